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
	outRGBA = float4(color, 1.0);

	gl_FragColor = outRGBA;
}
