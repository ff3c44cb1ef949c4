#pragma once
// qorabsAttribute: one attribute a translator hands the host with its item.
// The ids are the host's; each id has one attribute class:
//
//   NAME -> qorabsName, LAYER -> qorabsLayer, COLOUR -> qorabsColour,
//   CURVE, TRIANGLEBLOCK, POINTCLOUD -> qorabsAttribute (a kind marker that
//   carries no value: checking it out says what the item is).
enum qorabsAttributeId {
    NAME = 1,
    LAYER = 2,
    COLOUR = 3,
    CURVE = 4,
    TRIANGLEBLOCK = 5,
    POINTCLOUD = 6,
};

class qorabsAttribute {
public:
    virtual ~qorabsAttribute() = default;
};
