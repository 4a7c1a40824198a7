enum A { a, b, };
enum B { };
