protocol A { var a: Int { get }; func b() -> Int; associatedtype C }
