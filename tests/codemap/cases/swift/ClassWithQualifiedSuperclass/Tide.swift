class Table: UIKit.UIView, Model.Tide.Observing {}
