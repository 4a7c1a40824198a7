func body() -> some View { Text("a") }
func body(of thing: any Thing) -> (some View)? { nil }
