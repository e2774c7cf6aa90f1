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
	uniform samplerCube environment;
	uniform float3 tint;
	uniform float clarity;

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
	float3 mirrored = reflect(-toEye, normal);
	float grazing = clamp(1.0 - dot(normal, toEye), 0.0, 1.0);
	float3 reflectance = tint + (float3(1.0, 1.0, 1.0) - tint) * pow(grazing, 5.0);
	float3 color = (0.2 + 0.8 * clarity) * reflectance * textureCube(environment, mirrored).xyz;
	outRGBA = float4(color, 1.0);

	gl_FragColor = outRGBA;
}
