struct A : B {
    using B::B;
    using Base = B;
};
