items.forEach { item in
    let a = item
    func b() {}
}
run(job: { let c = 1 }, then: { }) { let d = 1 }
[1, 2].map { $0 }
(1 + 2).print()
x = { let e = 1 }()
open(file)
final.run { let f = 1 }
let g = 1
