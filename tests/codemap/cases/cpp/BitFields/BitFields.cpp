struct Flags {
    unsigned low : 4;
    unsigned : 0;
    unsigned high : 4, top : 1;
};
