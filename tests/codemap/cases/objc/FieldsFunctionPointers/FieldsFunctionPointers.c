struct calls {
    int (*open)(const char *name, int mode);
    void (*close)(void);
    int (*(*choose)(int))(char);
};
