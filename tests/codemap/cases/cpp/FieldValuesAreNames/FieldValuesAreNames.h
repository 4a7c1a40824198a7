class Encoder {
    static const int inSize = 16384;
    static const int outSize = inSize;
    Mode mode = useNone, other = useAll;
};
struct UNUSED Value {};
struct EXPORT Options {
    Options();
    bool sync = false;
};
