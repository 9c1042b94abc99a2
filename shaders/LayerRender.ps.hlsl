// Colours one eye's layer: the source texture, upside down on request, brought to the companion's gamma.

cbuffer Parameters : register(b1)
{
    int InvertY;
    float3 pad1;
};

Texture2D SourceTexture : register(t0);
SamplerState SamplerDefault : register(s0);

struct VSOutQuad
{
    float4 Pos : SV_POSITION;
    float2 Tex : TEXCOORD0;
};

float4 main(VSOutQuad input) : SV_TARGET
{
    float2 coordinates = input.Tex;
    if (InvertY > 0)
    {
        coordinates.y = 1.0 - coordinates.y;
    }
    float3 colour = SourceTexture.Sample(SamplerDefault, coordinates).rgb;
    // A power of a negative number is undefined; floating-point textures may hold one.
    return float4(pow(max(colour, 0.0), 1.0 / 2.2), 1.0);
}
