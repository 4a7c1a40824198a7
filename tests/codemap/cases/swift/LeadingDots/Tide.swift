let a = Foo()
    .bar()
    .baz { let b = 1 }
    .qux
let c = 1
