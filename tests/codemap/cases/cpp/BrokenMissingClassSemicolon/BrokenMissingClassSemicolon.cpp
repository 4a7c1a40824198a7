class A { int a; }
class B { int b; };
