struct A { let a = 1; func f() { g() }; var b: Int { 1 }; init() {} }
enum B { case a, b; var c: Int { 1 } }
protocol C { func f(); var a: Int { get }; init() }
