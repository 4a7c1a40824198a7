func a<T>(_ b: T.Type = T.self, c: Any.Type) -> T.Type {}
