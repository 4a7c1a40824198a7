struct A {
<<<<<<< ours
    let a = 1
=======
    let b = 2
>>>>>>> theirs
    func f() {}
}
