struct A<T: Collection> where T.Element: Collection<Array<Int>> {
    let a: Array<Array<Array<Int>>> = []
    func f<U>(x: Array<Array<U>>) -> Array<Set<U>>? { nil }
    let b: Result<Int, Error>! = nil
}
