	// STANDARD PARAMETERS
	varying vec3 gWorldPos;
	varying vec3 var_gWorldNormal;
	varying vec3 var_gWorldTangent;
	
	// CUSTOM PARAMETERS
varying vec2 var_uv;

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
	uniform sampler2D normalMap;
	uniform float3 diffuseColor;
	uniform float relief;

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
	float2 uv = var_uv;

	float3 smooth_n = normalize(gWorldNormal);
	float3 tangent = normalize(gWorldTangent - dot(gWorldTangent, smooth_n) * smooth_n);
	float3 bitangent = cross(smooth_n, tangent);
	float3 bump = 2.0 * texture2D(normalMap, uv).xyz - float3(1.0, 1.0, 1.0);
	float3 slope = 2.0 * relief * (bump.x * tangent + bump.y * bitangent);
	float3 normal = normalize(slope + bump.z * smooth_n);
	float3 toEye = normalize(gEyePos.xyz - gWorldPos);
	float3 color = float3(0.0, 0.0, 0.0);
	outRGBA = float4(color, 1.0);

	gl_FragColor = outRGBA;
}
