/* one /* two /* three */ } */ { */
struct A {
    /* } */ let a = 1
    func f() { /* } /* } */ } */ }
    let b = 2
}
