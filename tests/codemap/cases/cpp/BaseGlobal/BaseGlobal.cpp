struct A : ::B {};
