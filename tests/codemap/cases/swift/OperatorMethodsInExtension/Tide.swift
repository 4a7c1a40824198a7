extension A {
    static func - (l: A, r: A) -> A { l }
    static func -= (l: inout A, r: A) {}
    static prefix func ~ (a: A) -> A { a }
    static func ... (l: A, r: A) -> A { l }
    static func ..< (l: A, r: A) -> A { l }
}
