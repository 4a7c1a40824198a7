class A {
    enum { one, two };
    enum Kind { three } kind;
};
