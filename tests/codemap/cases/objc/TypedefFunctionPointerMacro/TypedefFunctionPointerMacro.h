typedef void (APIENTRY *DRAWPROC)(int mode);
typedef void (APIENTRYP CLEARPROC)(int mask);
