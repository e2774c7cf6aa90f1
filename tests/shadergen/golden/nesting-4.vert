	// STANDARD PARAMETERS
	attribute vec3 gObjTangent;
	
	// CUSTOM PARAMETERS
	// STANDARD PARAMETERS
	varying vec3 gWorldPos;
	varying vec3 var_gWorldNormal;
	varying vec3 var_gWorldTangent;
	
	// CUSTOM PARAMETERS

#define matrix4 mat4
#define matrix3 mat3
#define float4 vec4
#define float3 vec3
#define float2 vec2
#define mul(a,b) ((a)*(b))
#define shadow2DProj(a,b) (shadow2DProj((a),(b)).x)

uniform mat4 objToWorldMatrix;
uniform mat4 objToWorldMatrix_invtrans;

void main()
{
	// Compute the window/clip-space and world-space vertex positions.
	gl_Position = ftransform();
	gWorldPos = (objToWorldMatrix * gl_Vertex).xyz;
	
	// Copy the texture coordinates.
	//
	
	// Compute the world-space normal and tangent.
	//
	vec3 oNormal = normalize(gl_Normal);
	vec3 oTangent = normalize(gObjTangent);
	var_gWorldNormal = (objToWorldMatrix_invtrans * vec4(oNormal, 0.0)).xyz;
	var_gWorldTangent = (objToWorldMatrix_invtrans * vec4(oTangent, 0.0)).xyz;
	
}
