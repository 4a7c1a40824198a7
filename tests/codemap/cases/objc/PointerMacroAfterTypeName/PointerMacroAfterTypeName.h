typedef GLboolean (GL_APIENTRYP PFNGLISBUFFERPROC)(GLuint buffer);
typedef void (EGLAPIENTRYP PFNEGLFLUSHPROC)(void);
struct Table {
    EGLBoolean (EGLAPIENTRYP initialize)(EGLDisplay display);
};
