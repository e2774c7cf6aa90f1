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
	uniform float3 grassColor;
	uniform float3 rockColor;
	uniform float waterLine;
	uniform float snowLine;

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
	float altitude = gWorldPos.y - 2.0 * waterLine + 1.0;
	float3 ground = grassColor * float3(0.35, 0.7, 0.25);
	float gloss = 0.0;
	if (altitude < 0.0)
	{
		ground = float3(0.05, 0.2, 0.35);
		gloss = 1.0;
		if (altitude > -0.06)
		{
			ground = float3(0.75, 0.7, 0.5);
		}
		else
		{			ground += 0.3 * altitude * float3(0.1, 0.2, 0.2);
		}
	}
	else
	{		if (altitude > snowLine)
		{
			ground = 0.5 * rockColor;
			if (normal.y > 0.55)
			{
				ground = float3(0.95, 0.95, 1.0);
				gloss = 0.3;
			}
		}
		else
		{			if (normal.y < 0.1)
			{
				ground = 0.5 * rockColor;
			}
		}
	}
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
			float facing = dot(normal, gLightWorldDir);
			if (facing > 0.0)
			{
				float3 halfway = normalize(gLightWorldDir + toEye);
				color += facing * ground * gLightDiffuseColor;
				if (gloss > 0.0)
				{
					color += gloss * pow(max(dot(normal, halfway), 0.0), 50.0) * gLightSpecularColor;
				}
			}
			color += ground * gLightAmbientColor;
		}
	}
	outRGBA = float4(color, 1.0);

	gl_FragColor = outRGBA;
}
