protocol A {
    init()
    init?(x: Int)
    init<T>(_ t: T) where T: B
    func after()
}
