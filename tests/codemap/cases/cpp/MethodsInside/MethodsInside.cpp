class Tide {
    void rise() { if (a) { } }
    int height() const { return 1; }
    virtual void ebb() = 0;
    static Tide *make(int a, int b);
    auto name() const -> std::string;
    void last() const & noexcept override final;
};
