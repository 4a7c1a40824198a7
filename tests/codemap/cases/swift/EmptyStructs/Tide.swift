struct A {}; struct B {}
struct C { struct D {} }
