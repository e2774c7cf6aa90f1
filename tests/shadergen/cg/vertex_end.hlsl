
#undef uniform
uniform float4x4 objToWorldMatrix;
uniform float4x4 objToWorldMatrix_invtrans;

vert2frag main(app2vert IN)
{
    return cgMain(IN, glstate.cgMatrix.mvp, objToWorldMatrix, objToWorldMatrix_invtrans);
}
