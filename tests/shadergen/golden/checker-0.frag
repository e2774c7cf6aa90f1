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



//NODE-SPECIFIC UNIFORMS
//

	// MATERIAL
	//
	uniform float3 lightColor;
	uniform float3 darkColor;
	uniform float frequency;
	uniform float sharpness;
	uniform matrix4 worldToPattern;

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

	float3 normal = normalize(gWorldNormal);
	float3 place = mul(worldToPattern, float4(gWorldPos, 1.0)).xyz;
	float3 wave = sin(3.14159265 * (1.0 + 8.0 * frequency) * place);
	float parity = clamp(0.5 + (2.0 + 30.0 * sharpness) * wave.x * wave.y * wave.z, 0.0, 1.0);
	float3 dark = 0.2 * darkColor;
	float3 surface = dark + (lightColor - dark) * parity;
	float3 received = float3(0.0, 0.0, 0.0);
	outRGBA = float4(surface * received, 1.0);

	gl_FragColor = outRGBA;
}
