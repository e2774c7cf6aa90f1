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



//NODE-SPECIFIC UNIFORMS
//

	// key
	uniform float3 keycolor;
	uniform float3 keyposition;
	uniform float keydecay;

	// MATERIAL
	//
	uniform sampler2D baseMap;
	uniform sampler2D mossMap;
	uniform float3 wallColor;

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
	float2 baseUv = var_baseUv;
	float2 mossUv = var_mossUv;
	float3 paint = var_paint;
	float wetness = var_wetness;
	float occlusion = var_occlusion;
	float3 bentNormal = var_bentNormal;
	float4 layers = var_layers;

	float3 surface = wallColor * texture2D(baseMap, baseUv).xyz;
	float3 moss = texture2D(mossMap, mossUv).xyz * float3(0.35, 0.5, 0.2);
	surface += layers.x * (paint - surface);
	surface += layers.y * (moss - surface);
	surface += 0.5 * layers.z * (float3(0.7, 0.65, 0.55) - surface);
	surface += layers.w * (float3(0.45, 0.2, 0.08) - surface);
	surface *= 1.0 - 0.4 * wetness;
	float3 normal = normalize(gWorldNormal);
	float3 sky = normalize(bentNormal);
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
			float open = 1.0 - occlusion * (1.0 - max(dot(sky, gLightWorldDir), 0.0));
			float film = 0.6 * wetness * facing * pow(max(dot(normal, halfway), 0.0), 60.0);
			color += open * (surface * (gLightAmbientColor + facing * gLightDiffuseColor) + film * gLightSpecularColor);
		}
	}
	outRGBA = float4(color, 1.0);

	gl_FragColor = outRGBA;
}
