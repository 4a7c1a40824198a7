EXPORT(int) plain(void);
PyAPI_FUNC(const char *) named(int a);
extern DECLSPEC int SDLCALL quick(int a);
FOUNDATION_EXPORT NSString *NSHome(void);
