// A single triangle that covers the viewport, made from the vertex id alone, showing the whole texture.

struct VSOutQuad
{
    float4 Pos : SV_POSITION;
    float2 Tex : TEXCOORD0;
};

VSOutQuad main(uint id : SV_VertexID)
{
    VSOutQuad output;
    output.Tex = float2((id << 1) & 2, id & 2);
    output.Pos = float4(output.Tex * float2(2.0, -2.0) + float2(-1.0, 1.0), 0.0, 1.0);
    return output;
}
