struct A {
    const char *text = R"({ " } )";
    int after;
};
