// Shows the source texture without filtering, brought to the companion's gamma.

Texture2D SourceTexture : register(t0);

SamplerState SamplerPoint : register(s0)
{
    Filter = MIN_MAG_MIP_POINT;
    AddressU = Wrap;
    AddressV = Wrap;
};

struct VSOutQuad
{
    float4 Pos : SV_POSITION;
    float2 Tex : TEXCOORD0;
};

float4 main(VSOutQuad input) : SV_TARGET
{
    float3 colour = SourceTexture.Sample(SamplerPoint, input.Tex).rgb;
    // A power of a negative number is undefined; floating-point textures may hold one.
    return float4(pow(max(colour, 0.0), 1.0 / 2.2), 1.0);
}
