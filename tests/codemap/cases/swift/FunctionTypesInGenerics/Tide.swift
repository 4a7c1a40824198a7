struct A<T> {
    let a: Box<(Int) -> Void>
    let b: Box<(Int, String) -> Result<Int, Error>>, c: Int
    func f(x: Box<() -> Void>, y: Int) {}
}
