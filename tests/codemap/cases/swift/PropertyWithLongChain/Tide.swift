struct A {
    let b = c
        .d()
        // a comment between
        .e { f in
            let g = f
        }
        /* and another */
        .h
    let i = 1
}
