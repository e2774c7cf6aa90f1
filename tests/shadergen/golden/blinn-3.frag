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

	// sun
	uniform float3 suncolor;
	uniform float3 sundirection;

	// spot
	uniform float3 spotcolor;
	uniform float3 spotposition;
	uniform float3 spotaxis;
	uniform float spotcone;
	uniform float spotpenumbra;
	uniform float spotdecay;

	// show
	uniform float3 showcolor;
	uniform sampler2D showslide;
	uniform float3 showposition;
	uniform float3 showaxis;
	uniform float showwidth;

	// MATERIAL
	//
	uniform float3 diffuseColor;
	uniform float glossiness;
	uniform float metalness;

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

	float3 white = float3(1.0, 1.0, 1.0);
	float3 normal = normalize(gWorldNormal);
	float3 toEye = normalize(gEyePos.xyz - gWorldPos);
	float shininess = 1.0 + 255.0 * glossiness * glossiness;
	float3 tint = white + (diffuseColor - white) * metalness;
	float3 diffuse = float3(0.0, 0.0, 0.0);
	float3 specular = float3(0.0, 0.0, 0.0);
	{
		// LIGHT-SPECIFIC INPUTS
		vec3 outLightWorldDir;
		vec3 outLightAmbientColor;
		vec3 outLightDiffuseColor;
		vec3 outLightSpecularColor;

		{

			// LIGHT-SPECIFIC UNIFORMS.
			//
			float3 color = suncolor;
			float3 direction = sundirection;

			// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
			outLightWorldDir = normalize(direction);
			outLightAmbientColor = float3(0.0, 0.0, 0.0);
			outLightDiffuseColor = color;
			outLightSpecularColor = color;
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
			float grazing = clamp(1.0 - dot(halfway, toEye), 0.0, 1.0);
			float3 mirror = tint + (white - tint) * pow(grazing, 5.0);
			diffuse += gLightAmbientColor + facing * gLightDiffuseColor;
			specular += facing * pow(max(dot(normal, halfway), 0.0), shininess) * mirror * gLightSpecularColor;
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
			float3 color = spotcolor;
			float3 position = spotposition;
			float3 axis = spotaxis;
			float cone = spotcone;
			float penumbra = spotpenumbra;
			float decay = spotdecay;

			// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
			float3 toLight = position - gWorldPos;
			float rim = cos(cone);
			float core = cos(cone * (1.0 - penumbra)) + 0.0001;
			float inCone = smoothstep(rim, core, dot(normalize(toLight), normalize(axis)));
			float strength = inCone / (1.0 + decay * decay * dot(toLight, toLight));
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
			float grazing = clamp(1.0 - dot(halfway, toEye), 0.0, 1.0);
			float3 mirror = tint + (white - tint) * pow(grazing, 5.0);
			diffuse += gLightAmbientColor + facing * gLightDiffuseColor;
			specular += facing * pow(max(dot(normal, halfway), 0.0), shininess) * mirror * gLightSpecularColor;
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
			float3 color = showcolor;
			#define slide showslide

			float3 position = showposition;
			float3 axis = showaxis;
			float width = showwidth;

			// LIGHT-SPECIFIC ILLUMINATION COMPUTATION.
			float3 fromLight = gWorldPos - position;
			float3 backwards = normalize(axis);
			float3 right = normalize(cross(float3(0.0, 1.0, 0.0), backwards));
			float3 up = cross(backwards, right);
			float depth = -dot(fromLight, backwards);
			float2 across = float2(dot(fromLight, right), dot(fromLight, up));
			float2 onSlide = across / width + float2(depth, depth);
			float3 tint = texture2DProj(slide, float3(0.5 * onSlide.x, 0.5 * onSlide.y, depth)).xyz;
			float3 arriving = step(0.0, depth) * tint * color;
			outLightWorldDir = -normalize(fromLight);
			outLightAmbientColor = float3(0.0, 0.0, 0.0);
			outLightDiffuseColor = arriving;
			outLightSpecularColor = arriving;
			#undef slide
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
			float grazing = clamp(1.0 - dot(halfway, toEye), 0.0, 1.0);
			float3 mirror = tint + (white - tint) * pow(grazing, 5.0);
			diffuse += gLightAmbientColor + facing * gLightDiffuseColor;
			specular += facing * pow(max(dot(normal, halfway), 0.0), shininess) * mirror * gLightSpecularColor;
		}
	}
	outRGBA = float4((1.0 - 0.8 * metalness) * diffuseColor * diffuse + specular, 1.0);

	gl_FragColor = outRGBA;
}
