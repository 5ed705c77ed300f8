#include "viewer/scene/light.h"

#include "platform/winsys/opengl.h"

#include <array>

namespace viewer
{

namespace
{

/// Intensities of grey light, and its direction in coordinates of the eye.
struct LightSetting {
    GLfloat scene_ambient;
    GLfloat diffuse;
    GLfloat specular;
    std::array<GLfloat, 4> position; ///< the last one is 0: the light is infinitely far away
};

/// Seen from a corner, the light differs on the three sides of a box: it is 0.89, 0.64 and 0.44 of their
/// colour. The control's own light adds 0.01, and half of the specular light is reflected. So a white face
/// that is turned to the light has 0.36 + 0.01 + 0.59 + 0.03: just less than white, whatever its direction.
constexpr LightSetting kShoulder{0.36F, 0.59F, 0.08F, {-0.233F, 0.486F, 0.837F, 0.0F}};

/// NOTE: The scene's ambient light and the position are the defaults of OpenGL, the others those of the
/// control.
constexpr LightSetting kEye{0.2F, 1.0F, 1.0F, {0.0F, 0.0F, 1.0F, 0.0F}};

void SetSceneAmbient(GLfloat intensity)
{
    const std::array<GLfloat, 4> color{intensity, intensity, intensity, 1.0F};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, color.data());
}

void SetLight0(GLenum name, GLfloat intensity)
{
    const std::array<GLfloat, 4> color{intensity, intensity, intensity, 1.0F};
    glLightfv(GL_LIGHT0, name, color.data());
}

void SetPosition(const std::array<GLfloat, 4>& position)
{
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    // OpenGL transforms the position by the matrix of this moment.
    glLoadIdentity();
    glLightfv(GL_LIGHT0, GL_POSITION, position.data());
    glPopMatrix();
    glMatrixMode(static_cast<GLenum>(mode));
}

} // namespace

void SetLight(Light light)
{
    // Lighting stays on even without a light: the control's lines would turn it on again, in the middle of a
    // frame.
    glEnable(GL_LIGHTING);
    if (light == Light::None) {
        glDisable(GL_LIGHT0);
        SetSceneAmbient(1.0F);
        return;
    }
    const LightSetting& setting = light == Light::Shoulder ? kShoulder : kEye;
    glEnable(GL_LIGHT0);
    SetSceneAmbient(setting.scene_ambient);
    SetLight0(GL_DIFFUSE, setting.diffuse);
    SetLight0(GL_SPECULAR, setting.specular);
    SetPosition(setting.position);
}

Light NextLight(Light light)
{
    switch (light) {
    case Light::Shoulder:
        return Light::Eye;
    case Light::Eye:
        return Light::None;
    default:
        return Light::Shoulder;
    }
}

} // namespace viewer
