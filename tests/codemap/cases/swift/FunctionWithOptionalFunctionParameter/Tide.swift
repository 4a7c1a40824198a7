func a(b: ((Int) -> Void)? = nil, c: (() -> Void)!) {}
