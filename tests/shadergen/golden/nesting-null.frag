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
	uniform float u;

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

	before = 1;
	illuminance
	{
		only = 2;
	}
	if (u > 0.5)
	{
		illuminance
		{
			outer = 3;
			if (u > 0.7)
			{
				illuminance
				{
					inner = 4;
					{
						nested = 5;
					}
				}
			}
			last = 6;
		}
	}
	else
	{		illuminance
		{
			other = 7;
		}
	}
	{
		first = 8;
		illuminance
		{
		}
	}
	illuminance (P) opaque = 9;
	after = 10;

	gl_FragColor = outRGBA;
}
