	// STANDARD PARAMETERS
	attribute vec3 gObjTangent;
	
	// CUSTOM PARAMETERS
	attribute vec1 x3;
	attribute vec3 yzw3;
	attribute vec2 xy4;
	attribute vec0 noComponents;
	attribute vec1 z4;
	attribute vec4 all5;
	attribute vec9 nowhere;
	attribute vec4 all6;
	attribute vec1 lastOfFour;
	attribute vec2 xy7;
	attribute vec3 noRoom;
	attribute vec4 noRoomEither;
	attribute vec1 z7;
	attribute vec0 texture;
	// STANDARD PARAMETERS
	varying vec3 gWorldPos;
	varying vec3 var_gWorldNormal;
	varying vec3 var_gWorldTangent;
	
	// CUSTOM PARAMETERS
varying vec1 var_x3;
varying vec3 var_yzw3;
varying vec2 var_xy4;
varying vec0 var_noComponents;
varying vec1 var_z4;
varying vec4 var_all5;
varying vec9 var_nowhere;
varying vec4 var_all6;
varying vec1 var_lastOfFour;
varying vec2 var_xy7;
varying vec3 var_noRoom;
varying vec4 var_noRoomEither;
varying vec1 var_z7;
varying vec0 var_texture;

#define matrix4 mat4
#define matrix3 mat3
#define float4 vec4
#define float3 vec3
#define float2 vec2
#define mul(a,b) ((a)*(b))
#define shadow2DProj(a,b) (shadow2DProj((a),(b)).x)

uniform mat4 objToWorldMatrix;
uniform mat4 objToWorldMatrix_invtrans;

void main()
{
	// Compute the window/clip-space and world-space vertex positions.
	gl_Position = ftransform();
	gWorldPos = (objToWorldMatrix * gl_Vertex).xyz;
	
	// Copy the texture coordinates.
	//
var_x3 = x3;
var_yzw3 = yzw3;
var_xy4 = xy4;
var_noComponents = noComponents;
var_z4 = z4;
var_all5 = all5;
var_nowhere = nowhere;
var_all6 = all6;
var_lastOfFour = lastOfFour;
var_xy7 = xy7;
var_noRoom = noRoom;
var_noRoomEither = noRoomEither;
var_z7 = z7;
var_texture = texture;
	
	// Compute the world-space normal and tangent.
	//
	vec3 oNormal = normalize(gl_Normal);
	vec3 oTangent = normalize(gObjTangent);
	var_gWorldNormal = (objToWorldMatrix_invtrans * vec4(oNormal, 0.0)).xyz;
	var_gWorldTangent = (objToWorldMatrix_invtrans * vec4(oTangent, 0.0)).xyz;
	
}
