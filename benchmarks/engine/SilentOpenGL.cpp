// OpenGL entry points that do nothing, in a file of their own so that no compiler can leave their calls out.

#include <qopengl.h>

extern "C" {

void APIENTRY glBegin(GLenum /*mode*/) {}
void APIENTRY glEnd() {}
void APIENTRY glVertex3f(GLfloat /*x*/, GLfloat /*y*/, GLfloat /*z*/) {}
void APIENTRY glColor4f(GLfloat /*red*/, GLfloat /*green*/, GLfloat /*blue*/, GLfloat /*alpha*/) {}

} // extern "C"
