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

	// head

	// head

	// MATERIAL
	//
	uniform float3 coatColor;
	uniform float3 flakeColor;
	uniform float clearness;

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
	float mirrored = 0.04 + 0.96 * pow(clamp(1.0 - dot(normal, toEye), 0.0, 1.0), 5.0);
	float3 below = float3(0.0, 0.0, 0.0);
	{
		// LIGHT-SPECIFIC INPUTS
		vec3 outLightWorldDir;
		vec3 outLightAmbientColor;
		vec3 outLightDiffuseColor;
		vec3 outLightSpecularColor;

		{

			// LIGHT-SPECIFIC UNIFORMS.
			//

			// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
			outLightWorldDir = normalize(gEyePos.xyz - gWorldPos);
			outLightAmbientColor = float3(0.0, 0.0, 0.0);
			outLightDiffuseColor = float3(1.0, 1.0, 1.0);
			outLightSpecularColor = float3(1.0, 1.0, 1.0);
		}
		{
			// MATERIAL-SPECIFIC INPUTS
			vec3 gLightWorldDir = outLightWorldDir;
			vec3 gLightAmbientColor = outLightAmbientColor;
			vec3 gLightDiffuseColor = outLightDiffuseColor;
			vec3 gLightSpecularColor = outLightSpecularColor;

			// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
			float facing = max(dot(normal, gLightWorldDir), 0.0);
			below += coatColor * (gLightAmbientColor + facing * gLightDiffuseColor);
			below += 0.4 * flakeColor * pow(facing, 8.0) * gLightSpecularColor;
		}
	}
	float3 color = (1.0 - mirrored) * below;
	{
		// LIGHT-SPECIFIC INPUTS
		vec3 outLightWorldDir;
		vec3 outLightAmbientColor;
		vec3 outLightDiffuseColor;
		vec3 outLightSpecularColor;

		{

			// LIGHT-SPECIFIC UNIFORMS.
			//

			// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
			outLightWorldDir = normalize(gEyePos.xyz - gWorldPos);
			outLightAmbientColor = float3(0.0, 0.0, 0.0);
			outLightDiffuseColor = float3(1.0, 1.0, 1.0);
			outLightSpecularColor = float3(1.0, 1.0, 1.0);
		}
		{
			// MATERIAL-SPECIFIC INPUTS
			vec3 gLightWorldDir = outLightWorldDir;
			vec3 gLightAmbientColor = outLightAmbientColor;
			vec3 gLightDiffuseColor = outLightDiffuseColor;
			vec3 gLightSpecularColor = outLightSpecularColor;

			// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
			float3 halfway = normalize(gLightWorldDir + toEye);
			float highlight = pow(max(dot(normal, halfway), 0.0), 20.0 + 400.0 * clearness);
			color += (0.2 + mirrored) * highlight * gLightSpecularColor;
		}
	}
	outRGBA = float4(color, 1.0);

	gl_FragColor = outRGBA;
}
