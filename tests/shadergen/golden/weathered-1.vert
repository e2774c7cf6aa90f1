	// STANDARD PARAMETERS
	attribute vec3 gObjTangent;
	
	// CUSTOM PARAMETERS
	attribute vec2 baseUv;
	attribute vec2 mossUv;
	attribute vec3 paint;
	attribute vec1 wetness;
	attribute vec1 occlusion;
	attribute vec3 bentNormal;
	attribute vec4 layers;
	// STANDARD PARAMETERS
	varying vec3 gWorldPos;
	varying vec3 var_gWorldNormal;
	varying vec3 var_gWorldTangent;
	
	// CUSTOM PARAMETERS
varying vec2 var_baseUv;
varying vec2 var_mossUv;
varying vec3 var_paint;
varying vec1 var_wetness;
varying vec1 var_occlusion;
varying vec3 var_bentNormal;
varying vec4 var_layers;

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
var_baseUv = baseUv;
var_mossUv = mossUv;
var_paint = paint;
var_wetness = wetness;
var_occlusion = occlusion;
var_bentNormal = bentNormal;
var_layers = layers;
	
	// Compute the world-space normal and tangent.
	//
	vec3 oNormal = normalize(gl_Normal);
	vec3 oTangent = normalize(gObjTangent);
	var_gWorldNormal = (objToWorldMatrix_invtrans * vec4(oNormal, 0.0)).xyz;
	var_gWorldTangent = (objToWorldMatrix_invtrans * vec4(oTangent, 0.0)).xyz;
	
}
