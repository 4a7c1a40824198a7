let actor = Person()
func play(actor: Person) {}
struct Cast {
    var actor: Person
    var actors: [Person]
}
