#include "Scene/controller/IOruSceneController.h"

IOruSceneController::~IOruSceneController() = default;
