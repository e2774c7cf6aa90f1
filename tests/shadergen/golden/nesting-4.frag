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
	uniform float3 keya;
	uniform sampler2D keys;
	uniform sampler1DShadow keyt;
	uniform matrix4 keym;
	uniform int keyi;

	// fill

	// key
	uniform float3 keya;
	uniform sampler2D keys;
	uniform sampler1DShadow keyt;
	uniform matrix4 keym;
	uniform int keyi;

	// fill

	// key
	uniform float3 keya;
	uniform sampler2D keys;
	uniform sampler1DShadow keyt;
	uniform matrix4 keym;
	uniform int keyi;

	// fill

	// key
	uniform float3 keya;
	uniform sampler2D keys;
	uniform sampler1DShadow keyt;
	uniform matrix4 keym;
	uniform int keyi;

	// fill

	// key
	uniform float3 keya;
	uniform sampler2D keys;
	uniform sampler1DShadow keyt;
	uniform matrix4 keym;
	uniform int keyi;

	// fill

	// key
	uniform float3 keya;
	uniform sampler2D keys;
	uniform sampler1DShadow keyt;
	uniform matrix4 keym;
	uniform int keyi;

	// fill

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
	{
		// LIGHT-SPECIFIC INPUTS
		vec3 outLightWorldDir;
		vec3 outLightAmbientColor;
		vec3 outLightDiffuseColor;
		vec3 outLightSpecularColor;

		{

			// LIGHT-SPECIFIC UNIFORMS.
			//
			float3 a = keya;
			#define s keys

			#define t keyt

			matrix4 m = keym;
			int i = keyi;

			// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
			outLightWorldDir = a;
			{
				outLightDiffuseColor = m;
			}
			#undef s
			#undef t
		}
		{
			// MATERIAL-SPECIFIC INPUTS
			vec3 gLightWorldDir = outLightWorldDir;
			vec3 gLightAmbientColor = outLightAmbientColor;
			vec3 gLightDiffuseColor = outLightDiffuseColor;
			vec3 gLightSpecularColor = outLightSpecularColor;

			// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
			only = 2;
		}
	}
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
			illuminance
			{
				own = 1;
			}
			if (own > 0)
			{
				illuminance
				{
				}
			}
		}
		{
			// MATERIAL-SPECIFIC INPUTS
			vec3 gLightWorldDir = outLightWorldDir;
			vec3 gLightAmbientColor = outLightAmbientColor;
			vec3 gLightDiffuseColor = outLightDiffuseColor;
			vec3 gLightSpecularColor = outLightSpecularColor;

			// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
			only = 2;
		}
	}
	if (u > 0.5)
	{
		{
			// LIGHT-SPECIFIC INPUTS
			vec3 outLightWorldDir;
			vec3 outLightAmbientColor;
			vec3 outLightDiffuseColor;
			vec3 outLightSpecularColor;

			{

				// LIGHT-SPECIFIC UNIFORMS.
				//
				float3 a = keya;
				#define s keys

				#define t keyt

				matrix4 m = keym;
				int i = keyi;

				// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
				outLightWorldDir = a;
				{
					outLightDiffuseColor = m;
				}
				#undef s
				#undef t
			}
			{
				// MATERIAL-SPECIFIC INPUTS
				vec3 gLightWorldDir = outLightWorldDir;
				vec3 gLightAmbientColor = outLightAmbientColor;
				vec3 gLightDiffuseColor = outLightDiffuseColor;
				vec3 gLightSpecularColor = outLightSpecularColor;

				// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
				outer = 3;
				if (u > 0.7)
				{
					{
						// LIGHT-SPECIFIC INPUTS
						vec3 outLightWorldDir;
						vec3 outLightAmbientColor;
						vec3 outLightDiffuseColor;
						vec3 outLightSpecularColor;

						{

							// LIGHT-SPECIFIC UNIFORMS.
							//
							float3 a = keya;
							#define s keys

							#define t keyt

							matrix4 m = keym;
							int i = keyi;

							// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
							outLightWorldDir = a;
							{
								outLightDiffuseColor = m;
							}
							#undef s
							#undef t
						}
						{
							// MATERIAL-SPECIFIC INPUTS
							vec3 gLightWorldDir = outLightWorldDir;
							vec3 gLightAmbientColor = outLightAmbientColor;
							vec3 gLightDiffuseColor = outLightDiffuseColor;
							vec3 gLightSpecularColor = outLightSpecularColor;

							// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
							inner = 4;
							{
								nested = 5;
							}
						}
					}
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
							illuminance
							{
								own = 1;
							}
							if (own > 0)
							{
								illuminance
								{
								}
							}
						}
						{
							// MATERIAL-SPECIFIC INPUTS
							vec3 gLightWorldDir = outLightWorldDir;
							vec3 gLightAmbientColor = outLightAmbientColor;
							vec3 gLightDiffuseColor = outLightDiffuseColor;
							vec3 gLightSpecularColor = outLightSpecularColor;

							// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
							inner = 4;
							{
								nested = 5;
							}
						}
					}
				}
				last = 6;
			}
		}
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
				illuminance
				{
					own = 1;
				}
				if (own > 0)
				{
					illuminance
					{
					}
				}
			}
			{
				// MATERIAL-SPECIFIC INPUTS
				vec3 gLightWorldDir = outLightWorldDir;
				vec3 gLightAmbientColor = outLightAmbientColor;
				vec3 gLightDiffuseColor = outLightDiffuseColor;
				vec3 gLightSpecularColor = outLightSpecularColor;

				// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
				outer = 3;
				if (u > 0.7)
				{
					{
						// LIGHT-SPECIFIC INPUTS
						vec3 outLightWorldDir;
						vec3 outLightAmbientColor;
						vec3 outLightDiffuseColor;
						vec3 outLightSpecularColor;

						{

							// LIGHT-SPECIFIC UNIFORMS.
							//
							float3 a = keya;
							#define s keys

							#define t keyt

							matrix4 m = keym;
							int i = keyi;

							// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
							outLightWorldDir = a;
							{
								outLightDiffuseColor = m;
							}
							#undef s
							#undef t
						}
						{
							// MATERIAL-SPECIFIC INPUTS
							vec3 gLightWorldDir = outLightWorldDir;
							vec3 gLightAmbientColor = outLightAmbientColor;
							vec3 gLightDiffuseColor = outLightDiffuseColor;
							vec3 gLightSpecularColor = outLightSpecularColor;

							// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
							inner = 4;
							{
								nested = 5;
							}
						}
					}
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
							illuminance
							{
								own = 1;
							}
							if (own > 0)
							{
								illuminance
								{
								}
							}
						}
						{
							// MATERIAL-SPECIFIC INPUTS
							vec3 gLightWorldDir = outLightWorldDir;
							vec3 gLightAmbientColor = outLightAmbientColor;
							vec3 gLightDiffuseColor = outLightDiffuseColor;
							vec3 gLightSpecularColor = outLightSpecularColor;

							// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
							inner = 4;
							{
								nested = 5;
							}
						}
					}
				}
				last = 6;
			}
		}
	}
	else
	{		{
			// LIGHT-SPECIFIC INPUTS
			vec3 outLightWorldDir;
			vec3 outLightAmbientColor;
			vec3 outLightDiffuseColor;
			vec3 outLightSpecularColor;

			{

				// LIGHT-SPECIFIC UNIFORMS.
				//
				float3 a = keya;
				#define s keys

				#define t keyt

				matrix4 m = keym;
				int i = keyi;

				// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
				outLightWorldDir = a;
				{
					outLightDiffuseColor = m;
				}
				#undef s
				#undef t
			}
			{
				// MATERIAL-SPECIFIC INPUTS
				vec3 gLightWorldDir = outLightWorldDir;
				vec3 gLightAmbientColor = outLightAmbientColor;
				vec3 gLightDiffuseColor = outLightDiffuseColor;
				vec3 gLightSpecularColor = outLightSpecularColor;

				// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
				other = 7;
			}
		}
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
				illuminance
				{
					own = 1;
				}
				if (own > 0)
				{
					illuminance
					{
					}
				}
			}
			{
				// MATERIAL-SPECIFIC INPUTS
				vec3 gLightWorldDir = outLightWorldDir;
				vec3 gLightAmbientColor = outLightAmbientColor;
				vec3 gLightDiffuseColor = outLightDiffuseColor;
				vec3 gLightSpecularColor = outLightSpecularColor;

				// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
				other = 7;
			}
		}
	}
	{
		first = 8;
		{
			// LIGHT-SPECIFIC INPUTS
			vec3 outLightWorldDir;
			vec3 outLightAmbientColor;
			vec3 outLightDiffuseColor;
			vec3 outLightSpecularColor;

			{

				// LIGHT-SPECIFIC UNIFORMS.
				//
				float3 a = keya;
				#define s keys

				#define t keyt

				matrix4 m = keym;
				int i = keyi;

				// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
				outLightWorldDir = a;
				{
					outLightDiffuseColor = m;
				}
				#undef s
				#undef t
			}
			{
				// MATERIAL-SPECIFIC INPUTS
				vec3 gLightWorldDir = outLightWorldDir;
				vec3 gLightAmbientColor = outLightAmbientColor;
				vec3 gLightDiffuseColor = outLightDiffuseColor;
				vec3 gLightSpecularColor = outLightSpecularColor;

				// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
			}
		}
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
				illuminance
				{
					own = 1;
				}
				if (own > 0)
				{
					illuminance
					{
					}
				}
			}
			{
				// MATERIAL-SPECIFIC INPUTS
				vec3 gLightWorldDir = outLightWorldDir;
				vec3 gLightAmbientColor = outLightAmbientColor;
				vec3 gLightDiffuseColor = outLightDiffuseColor;
				vec3 gLightSpecularColor = outLightSpecularColor;

				// MATERIAL-SPECIFIC ILLUMINANCE COMPUTATION
			}
		}
	}
	illuminance (P) opaque = 9;
	after = 10;

	gl_FragColor = outRGBA;
}
