struct Größe {
    let höhe = 1.0
    let 高さ: Int
    func 👍(größe: Int) {}
}
let π = 3.14
