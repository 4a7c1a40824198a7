class A {
protected:
    virtual void rise();
};
