@objc(doThis:withThat:) func doThis(_ a: Int, with that: Int) {}
@objc(NVTide) class Tide: NSObject {
    @objc dynamic var height = 0
    @NSManaged var name: String?
    @IBOutlet weak var label: UILabel!
    @IBInspectable var radius: CGFloat = 0 { didSet { layer.r = radius } }
}
