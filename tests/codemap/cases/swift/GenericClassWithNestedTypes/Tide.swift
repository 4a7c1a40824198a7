class A<T> {
    struct B<U> where U: P { let c: U }
    func d<V>(_ e: V) -> B<V> { B(c: e) }
}
