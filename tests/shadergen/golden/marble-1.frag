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
	uniform float3 stoneColor;
	uniform float3 veinColor;
	uniform float scale;
	uniform float turbulence;

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

	float3 place = (2.0 + 6.0 * scale) * gWorldPos;
	float3 bent = sin(1.7 * place.yzx + float3(0.3, 1.9, 4.1));
	bent += 0.5 * sin(3.1 * place.zxy + 2.0 * bent);
	bent += 0.25 * sin(6.3 * place.yxz + 3.0 * bent);
	float vein = 0.5 + 0.5 * sin(place.x + 0.6 * place.y + 4.0 * turbulence * (bent.x + bent.y * bent.z));
	float3 veinShade = 0.25 * veinColor;
	float3 stone = veinShade + (stoneColor - veinShade) * sqrt(vein);
	float3 normal = normalize(gWorldNormal);
	float3 toEye = normalize(gEyePos.xyz - gWorldPos);
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
			float3 halfway = normalize(gLightWorldDir + toEye);
			float facing = max(dot(normal, gLightWorldDir), 0.0);
			float polish = facing * pow(max(dot(normal, halfway), 0.0), 90.0);
			color += stone * (gLightAmbientColor + facing * gLightDiffuseColor) + 0.5 * polish * gLightSpecularColor;
		}
	}
	outRGBA = float4(color, 1.0);

	gl_FragColor = outRGBA;
}
