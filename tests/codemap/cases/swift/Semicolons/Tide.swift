let a = 1; let b = 2; func f() {}; struct A {};
var c = 3;
