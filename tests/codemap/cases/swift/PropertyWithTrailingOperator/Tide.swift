struct A {
    let b = c +
        d *
        e
    let f = g == h ||
        i
    let j = 1
}
