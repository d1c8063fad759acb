#pragma once

class OruSceneRender;

/// Opens and closes an edit session for the length of a scope.
///
/// Sessions nest by counting in the scene's `editDepth`: the editor in force hears beginEdit when the count
/// goes from 0 to 1 and endEdit when it goes from 1 to 0, and at no other time. A press opens with one guard
/// and the release closes with another, so the session spans all events between them.
///
/// A beginEdit that throws leaves the count as it was. An endEdit that throws leaves the count lowered; its
/// exception goes on unless another one is already on its way, which then stays the one that the host sees.
class OruSceneEditGuard
{
public:
    enum Kind : int
    {
        Opens = 1,
        Closes = 2,
        OpensAndCloses = 3
    };

    OruSceneEditGuard(OruSceneRender& render, int kind, unsigned int& depth);
    ~OruSceneEditGuard() noexcept(false);
    OruSceneEditGuard(const OruSceneEditGuard&) = delete;
    OruSceneEditGuard& operator=(const OruSceneEditGuard&) = delete;

private:
    void open();
    void close();

    OruSceneRender* render_;
    int kind_;
    unsigned int* depth_;
    int exceptionsOnEntry_;
};
