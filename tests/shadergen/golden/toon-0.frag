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
	uniform float3 diffuseColor;
	uniform float3 inkColor;
	uniform float tones;
	uniform float inkWidth;

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
	float3 toEye = normalize(gEyePos.xyz - gWorldPos);
	float count = 2.0 + floor(4.0 * tones);
	float3 color = float3(0.0, 0.0, 0.0);
	float inside = smoothstep(0.4 * inkWidth, 0.4 * inkWidth + 0.05, dot(normal, toEye));
	float3 ink = 0.25 * inkColor;
	outRGBA = float4(ink + (color - ink) * inside, 1.0);

	gl_FragColor = outRGBA;
}
