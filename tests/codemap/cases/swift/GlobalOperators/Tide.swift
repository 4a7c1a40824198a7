infix operator |>: B
precedencegroup B { associativity: left }
func |> <A, C>(a: A, f: (A) -> C) -> C { f(a) }
