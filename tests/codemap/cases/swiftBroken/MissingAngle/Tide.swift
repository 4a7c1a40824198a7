func f<T(x: T) {}
struct A<T {
    let a: Set<Int
    func g() {}
}
