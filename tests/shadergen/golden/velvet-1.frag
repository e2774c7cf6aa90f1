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

	// key
	uniform float3 keycolor;
	uniform float3 keyposition;
	uniform float keydecay;

	// MATERIAL
	//
	uniform float3 diffuseColor;
	uniform float3 sheenColor;
	uniform float pile;

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
	float grazing = clamp(1.0 - dot(normal, toEye), 0.0, 1.0);
	float sheen = pow(grazing, 1.0 + 5.0 * pile);
	float3 color = float3(0.0, 0.0, 0.0);
	{
		// LIGHT-SPECIFIC INPUTS
		vec3 outLightWorldDir;
		vec3 outLightAmbientColor;
		vec3 outLightDiffuseColor;
		vec3 outLightSpecularColor;

		{

			// LIGHT-SPECIFIC UNIFORMS.
			//
			float3 color = keycolor;
			float3 position = keyposition;
			float decay = keydecay;

			// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
			float3 toLight = position - gWorldPos;
			float strength = 1.0 / (1.0 + decay * decay * dot(toLight, toLight));
			outLightWorldDir = normalize(toLight);
			outLightAmbientColor = float3(0.0, 0.0, 0.0);
			outLightDiffuseColor = strength * color;
			outLightSpecularColor = strength * color;
		}
		{
			// MATERIAL-SPECIFIC INPUTS
			vec3 gLightWorldDir = outLightWorldDir;
			vec3 gLightAmbientColor = outLightAmbientColor;
			vec3 gLightDiffuseColor = outLightDiffuseColor;
			vec3 gLightSpecularColor = outLightSpecularColor;

			// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
			float wrapped = 0.5 + 0.5 * dot(normal, gLightWorldDir);
			float facing = max(dot(normal, gLightWorldDir), 0.0);
			color += 0.5 * diffuseColor * (gLightAmbientColor + facing * gLightDiffuseColor);
			color += sheen * wrapped * sheenColor * gLightSpecularColor;
		}
	}
	outRGBA = float4(color, 1.0);

	gl_FragColor = outRGBA;
}
