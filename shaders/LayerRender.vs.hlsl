// Draws one eye's layer: a single triangle that covers the viewport, made from the vertex id alone.
// The texture coordinates are then taken from the unit square to the part of the texture that the eye shows.

struct VRTextureBounds_t
{
    float uMin;
    float vMin;
    float uMax;
    float vMax;
};

cbuffer VSConstBuffer : register(b0)
{
    VRTextureBounds_t texBounds;
};

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
    output.Tex.x = (texBounds.uMax - texBounds.uMin) * output.Tex.x + texBounds.uMin;
    output.Tex.y = (texBounds.vMax - texBounds.vMin) * output.Tex.y + texBounds.vMin;
    return output;
}
