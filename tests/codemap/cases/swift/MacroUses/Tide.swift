#Preview("Tide") {
    let tide = Tide()
    TideScreen(tide: tide)
}
#Preview { A() }
@Model final class Tide {
    #warning("name it")
    #makeMembers(1) { let x = 1 }
    @Attribute(.unique) var id: Int
    @Relationship(deleteRule: .cascade, inverse: \Ship.tide) var ships: [Ship] = []
}
let a = #selector(Tide.rise)
let b = #keyPath(Tide.height)
let c = #file
