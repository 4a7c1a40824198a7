struct A {
    int final;
    int override;
    int import, module;
};
