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
	uniform sampler2D colorMap;
	uniform float glossiness;

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

	float3 normal = normalize(gWorldNormal);
	float3 toEye = normalize(gEyePos.xyz - gWorldPos);
	float4 texel = texture2D(colorMap, uv);
	float shininess = 1.0 + 127.0 * glossiness;
	float3 diffuse = float3(0.0, 0.0, 0.0);
	float3 specular = float3(0.0, 0.0, 0.0);
	outRGBA = float4(texel.xyz * diffuse + 0.5 * texel.w * specular, 1.0);

	gl_FragColor = outRGBA;
}
