	// STANDARD PARAMETERS
	varying vec3 gWorldPos;
	varying vec3 var_gWorldNormal;
	varying vec3 var_gWorldTangent;
	
	// CUSTOM PARAMETERS
varying vec1 var_x3;
varying vec3 var_yzw3;
varying vec2 var_xy4;
varying vec0 var_noComponents;
varying vec1 var_z4;
varying vec4 var_all5;
varying vec9 var_nowhere;
varying vec4 var_all6;
varying vec1 var_lastOfFour;
varying vec2 var_xy7;
varying vec3 var_noRoom;
varying vec4 var_noRoomEither;
varying vec1 var_z7;
varying vec0 var_texture;

#define matrix4 mat4
#define matrix3 mat3
#define float4 vec4
#define float3 vec3
#define float2 vec2
#define mul(a,b) ((a)*(b))
#define shadow2DProj(a,b) (shadow2DProj((a),(b)).x)



//NODE-SPECIFIC UNIFORMS
//

	// MATERIAL
	//
	uniform bool uniformBool;
	uniform float uniformFloat;
	uniform float3 uniformFloat3;
	uniform int2 uniformInt2;
	uniform matrix2 uniformMatrix2;
	uniform matrix4 uniformMatrix4;
	uniform sampler1DShadow uniformShadow;
	uniform samplerCube uniformCube;
	uniform string uniformString;
	uniform float4 gEyePos;

	// STANDARD PARAMETERS
	//
	uniform vec4 gEyePos;
void main() 
{
	// GLOBAL AND ALIASED VARIABLES
	//
	vec4 outRGBA;
	vec3 gWorldNormal = var_gWorldNormal;
	vec3 gWorldTangent = var_gWorldTangent;
	float x3 = var_x3;
	float3 yzw3 = var_yzw3;
	float2 xy4 = var_xy4;
	int2 noComponents = var_noComponents;
	bool z4 = var_z4;
	float4 all5 = var_all5;
	matrix3 nowhere = var_nowhere;
	float4 all6 = var_all6;
	float lastOfFour = var_lastOfFour;
	float2 xy7 = var_xy7;
	float3 noRoom = var_noRoom;
	float4 noRoomEither = var_noRoomEither;
	bool z7 = var_z7;
	sampler2D texture = var_texture;

	outRGBA = x3;

	gl_FragColor = outRGBA;
}
