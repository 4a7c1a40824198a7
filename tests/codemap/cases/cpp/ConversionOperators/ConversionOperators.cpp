struct A {
    operator int() const;
    operator std::string() const { return ""; }
    explicit operator bool();
    operator B *();
};
