# The formats of models that the viewer tells file managers of. A row: MIME type|suffixes|what a person calls it.
# A row without the last is a type of shared-mime-info, which knows its suffixes; the viewer's package brings the
# others along.
#
# The importer reads more suffixes. These are left out, since a file with such a name mostly is something else:
#   .3d .mesh .mot .raw .scn .uc .xml   words of many programs
#   .ac         input of autoconf           .acc  accounts, audio
#   .ase .ask   palettes, sprites           .bsp .pk3  archives of games
#   .cob        COBOL                       .csm  scripts of other modellers
#   .hmp        music                       .mdl  simulations, molecules
#   .pmx        music                       .prj  map projections, projects
#   .sib        scores                      .smd  mail, games for consoles
#   .x          input of lex and rpcgen     .step .stp  solids, no meshes yet
# and these, since there would be nothing to see:
#   .blend      files of this decade are beyond the importer
#   .irr .irrmesh .ter .x3db  so are these
#   .md5anim .md5camera .vta  motion without a body
set(KELVAR_FORMATS
    "model/3mf|3mf|"
    "model/gltf-binary|glb|"
    "model/gltf+json|gltf|"
    "model/obj|obj|"
    "model/stl|stl|"
    "image/vnd.dxf|dxf|"
    "image/x-3ds|3ds|"
    "image/x-lwo|lwo|"
    "image/x-lws|lws|"
    "application/x-amf|amf|AMF model"
    "model/vnd.collada+xml|dae|COLLADA model"
    "model/x-ac3d|ac3d|AC3D model"
    "model/x-assbin|assbin|assimp model"
    "model/x-b3d|b3d|Blitz3D model"
    "model/x-bvh|bvh|BVH skeleton"
    "model/x-collada-zip|zae|COLLADA archive"
    "model/x-fbx|fbx|FBX model"
    "model/x-ifc|ifc|IFC building model"
    "model/x-ifc-zip|ifczip|IFC building model, compressed"
    "model/x-iqm|iqm|Inter-Quake model"
    "model/x-lxo|lxo|Modo model"
    "model/x-md2|md2|Quake II model"
    "model/x-md3|md3|Quake III model"
    "model/x-md5mesh|md5mesh|Doom 3 model"
    "model/x-mdc|mdc|Return to Castle Wolfenstein model"
    "model/x-ms3d|ms3d|MilkShape 3D model"
    "model/x-ndo|ndo|Nendo model"
    "model/x-nff|nff enff|Neutral File Format model"
    "model/x-off|off|OFF model"
    "model/x-ogex|ogex|OpenGEX model"
    "model/x-ogre+xml|mesh.xml|OGRE model"
    "model/x-ply|ply|PLY model"
    "model/x-quick3d|q3o q3s|Quick3D model"
    "model/x-xgl|xgl|XGL model"
    "model/x-xgl-zip|zgl|XGL model, compressed"
    "model/x3d+xml|x3d|X3D model")
