#if DEBUG
struct A { let a = 1 }
#else
struct B { let b = 1 }
