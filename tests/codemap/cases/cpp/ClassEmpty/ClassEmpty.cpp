class A {};
struct B { };
union C {};
