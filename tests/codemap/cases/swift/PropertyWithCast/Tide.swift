struct A {
    let b = c as? D
    let e = f as! [G]
    let h = i is J
    let k = l
        as M
    let n = 1
}
