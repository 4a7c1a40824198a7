struct A : B {
    void rise() override;
    void ebb() const override final { run(); }
};
