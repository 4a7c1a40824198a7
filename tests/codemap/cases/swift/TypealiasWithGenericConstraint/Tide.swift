typealias A<T: B> = C<T> where T: D
typealias E = (F) -> Void; let g = 1
